// Absolute values of single numbers.
#ifndef PEX_CORE_ABS_ABS_H_
#define PEX_CORE_ABS_ABS_H_

// |x| by clearing the sign bit: no arithmetic, so no flag, and a NaN keeps its payload.
extern "C" double _pex_dabs_scalar(double x);
extern "C" float _pex_sabs_scalar(float x);

#endif  // PEX_CORE_ABS_ABS_H_
