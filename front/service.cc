// The calling thread's mode, status and callback under their public names, and statuses in words.
#include "pexquo/pexquo.h"

extern "C" {

const char* pexquoVersion(void) { return PEXQUO_VERSION; }

uint32_t pexSetMode(uint32_t mode) { return _pexSetMode(mode); }
uint32_t pexGetMode(void) { return _pexGetMode(); }
int32_t pexGetErrStatus(void) { return _pexGetErrStatus(); }
int32_t pexSetErrStatus(int32_t status) { return _pexSetErrStatus(status); }
int32_t pexClearErrStatus(void) { return _pexClearErrStatus(); }

PexErrorCallBack pexSetErrorCallBack(PexErrorCallBack callback) {
  return _pexSetErrorCallBack(callback);
}
PexErrorCallBack pexGetErrorCallBack(void) { return _pexGetErrorCallBack(); }
PexErrorCallBack pexClearErrorCallBack(void) { return _pexClearErrorCallBack(); }

const char* pexStatusText(int32_t status) {
  switch (status) {
    case PEX_STATUS_OK:
      return "no error";
    case PEX_STATUS_DOMAIN:
      return "an argument is outside the function's domain";
    case PEX_STATUS_SINGULARITY:
      return "the function has a pole at an argument";
    case PEX_STATUS_OVERFLOW:
      return "a result is too large to be represented";
    case PEX_STATUS_UNDERFLOW:
      return "a result is too small to be represented accurately";
    case PEX_STATUS_BAD_SIZE:
      return "the number of elements is negative";
    case PEX_STATUS_BAD_MEM:
      return "an array is null";
    default:
      return "no status of vector math";
  }
}

const char* quoStatusText(int32_t status) {
  switch (status) {
    case QUO_OK:
      return "no error";
    case QUO_BAD_METHOD:
      return "the generator does not know this way of initialising a stream";
    case QUO_BAD_ARGUMENT:
      return "the seed words are no valid set, or an argument of an abstract stream is wrong";
    case QUO_NO_MEMORY:
      return "there is not enough memory";
    case QUO_NULL_FUNCTION:
      return "a function or a buffer of the generator is null";
    case QUO_INVALID_BRNG:
      return "there is no such basic generator, or no such member of its family";
    case QUO_LEAPFROG_UNSUPPORTED:
      return "the generator cannot leapfrog";
    case QUO_SKIPAHEAD_UNSUPPORTED:
      return "the generator cannot skip ahead";
    case QUO_DIFFERENT_BRNGS:
      return "the streams belong to different generators";
    case QUO_BAD_STATE_SIZE:
      return "the state size of the generator is negative";
    case QUO_BAD_WORD_SIZE:
      return "the word size of the generator is not 4, 8 or 16 bytes";
    case QUO_BAD_SEED_COUNT:
      return "the seed count of the generator is not positive";
    case QUO_BAD_BIT_COUNT:
      return "the bit count of the generator is not positive";
    case QUO_BAD_STREAM_COUNT:
      return "the number of leapfrogging streams is not positive";
    case QUO_CLOSE_FAILED:
      return "the stream file could not be closed";
    case QUO_OPEN_FAILED:
      return "the stream file could not be opened";
    case QUO_WRITE_FAILED:
      return "the stream file could not be written";
    case QUO_READ_FAILED:
      return "the stream file ends too early";
    case QUO_BAD_FILE:
      return "the file holds no stream of a known generator";
    case QUO_BAD_FILE_FORMAT:
      return "the format of the stream file is unknown";
    case QUO_BAD_REFILL:
      return "the refill function of the abstract stream returned a count out of range";
    case QUO_EMPTY_REFILL:
      return "the refill function of the abstract stream returned no numbers";
    case QUO_WRONG_OUTPUT:
      return "the abstract stream holds numbers of another type than the distribution draws";
    case QUO_NULL_STREAM:
      return "the stream is null: it was never made or has been deleted";
    case QUO_DEAD_STREAM:
      return "the stream's head is damaged, or this is no stream";
    case QUO_NULL_POINTER:
      return "a pointer to a result, a name or a record is null";
    case QUO_NULL_ARRAY:
      return "an array is null";
    case QUO_BAD_COUNT:
      return "a count is negative or too large";
    case QUO_UNKNOWN_METHOD:
      return "the distribution has no such method";
    case QUO_NOT_FINITE:
      return "a parameter is infinite or not a number";
    case QUO_EMPTY_RANGE:
      return "the lower bound a is not below the upper bound b";
    case QUO_WIDE_RANGE:
      return "the bounds a and b are too large: their difference or sum overflows";
    case QUO_BAD_SCALE:
      return "a scale parameter (sigma or beta) is not positive";
    case QUO_BAD_SHAPE:
      return "a shape parameter (alpha, p or q) is not positive";
    case QUO_BAD_PROBABILITY:
      return "the probability p is outside the range of the distribution";
    case QUO_BAD_DIMENSION:
      return "the dimension is below 1, or too large for the number of vectors";
    case QUO_BAD_STORAGE:
      return "there is no such storage of a triangular factor";
    case QUO_BAD_TRIALS:
      return "the number of trials is negative";
    case QUO_BAD_MEAN:
      return "the mean lambda is not positive, or too large";
    case QUO_BAD_POPULATION:
      return "the population, sample and marked counts are not 0 <= s <= l and 0 <= m <= l";
    case QUO_BAD_SUCCESSES:
      return "the number of successes a is not positive";
    case QUO_BAD_LEAP:
      return "the place k is not one of the leapfrogging streams";
    default:
      return "no status of streams and distributions";
  }
}
}
