/* Pi by throwing points at a square, in four threads, each with a member of a family of generators:
 * one seed, four sequences that need no coordination. The answer does not depend on which thread
 * runs when, so doing it again one after the other gives the same points. */
#include <pthread.h>
#include <stdio.h>

#include "pexquo/quo.h"

enum { kThreads = 4, kPoints = 1000000, kBlock = 500 };

typedef struct Task {
  int32_t member;
  long inside;
  int32_t status;
} Task;

static void* Throw(void* argument) {
  Task* const task = argument;
  const uint32_t seed[] = {20130409};
  StreamState* stream = NULL;
  double xy[2 * kBlock];
  task->inside = 0;
  task->status = __quoNewStreamEx(&stream, QUO_BRNG_WH + task->member, 1, seed);
  for (int done = 0; done < kPoints && task->status == QUO_OK; done += kBlock) {
    task->status = _quodRngUniform(0, stream, 2 * kBlock, xy, 0, 1);
    for (int i = 0; i < 2 * kBlock; i += 2) {
      task->inside += xy[i] * xy[i] + xy[i + 1] * xy[i + 1] < 1;
    }
  }
  __quoDeleteStream(&stream);
  return NULL;
}

int main(void) {
  pthread_t threads[kThreads];
  Task tasks[kThreads];
  long together = 0, one_by_one = 0;
  for (int i = 0; i < kThreads; ++i) {
    tasks[i].member = i;
    if (pthread_create(&threads[i], NULL, Throw, &tasks[i]) != 0) {
      fprintf(stderr, "no thread\n");
      return 1;
    }
  }
  for (int i = 0; i < kThreads; ++i) {
    pthread_join(threads[i], NULL);
    if (tasks[i].status != QUO_OK) {
      fprintf(stderr, "status %d\n", tasks[i].status);
      return 1;
    }
    together += tasks[i].inside;
    printf("member %d: %.4f\n", i, 4.0 * tasks[i].inside / kPoints);
  }
  printf("pi is about %.4f\n", 4.0 * together / kThreads / kPoints);

  for (int i = 0; i < kThreads; ++i) {
    Throw(&tasks[i]);
    one_by_one += tasks[i].inside;
  }
  printf("one after the other: %s\n", one_by_one == together ? "the same" : "different");
  return one_by_one != together;
}
