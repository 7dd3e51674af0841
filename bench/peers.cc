#include "bench/peers.h"

#include "hwy/targets.h"

namespace bench {

std::vector<Peer> PeersAt(const Level& level) {
  const PeerRows groups[] = {level.target == HWY_AVX3   ? PeersAVX512()
                             : level.target == HWY_AVX2 ? PeersAVX2()
                                                        : PeersSSE4(),
                             PeersHighway(), PeersBoost()};
  std::vector<Peer> all;
  for (const PeerRows& group : groups) all.insert(all.end(), group.rows, group.rows + group.count);
  return all;
}

}  // namespace bench
