#ifndef PEX_CORE__HEAP_REAL_ROOT_POLYNOMIALS_H_
#define PEX_CORE__HEAP_REAL_ROOT_POLYNOMIALS_H_

namespace pex {

inline constexpr double dRootStart[] = {
    0x1.7c912067efe1p0, -0x1.3ec31b830c9bcp-1, 0x1.e02c9741eeba4p-4};
inline constexpr double dRootFirstStart[] = {
    0x1.7c912067efe1p0 * 0.7937005259840998, -0x1.3ec31b830c9bcp-1 * 0.7937005259840998, 0x1.e02c9741eeba4p-4 * 0.7937005259840998};
inline constexpr double dRootSecondStep = 1.8898815748423097;
inline constexpr float sRootStart[] = {
    0x1.7c913p0f, -0x1.3ec342p-1f, 0x1.e02cf6p-4f};
inline constexpr double dRootRest[] = {
    0x1p-1, 0x1.800000045463p-2, 0x1.40000004c339bp-2};

}  // namespace pex

#endif  // PEX_CORE__HEAP_REAL_ROOT_POLYNOMIALS_H_
