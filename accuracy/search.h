// The largest error by narrowing: where a sweep erred most is swept again, finer.
#ifndef ACCURACY_SEARCH_H_
#define ACCURACY_SEARCH_H_

#include "accuracy/measure.h"

namespace pex::accuracy {

// For functions of one argument. Cuts the catalogue's range into equal cells, the magnitudes
// 2^-64 .. 2^64 of both signs into cells of 1/8 octave, and the distances 2^-40 .. 1/4 from marks,
// zeros and ones into octaves; then goes on with the 64 and the 8 cells of the largest errors, half
// of the points anywhere in the cell and half about its worst point.
// settings.search points a round; the result is the regime "search".
RegimeResult Search(const Entry& entry, const Oracle& oracle, const Settings& settings);

}  // namespace pex::accuracy

#endif  // ACCURACY_SEARCH_H_
