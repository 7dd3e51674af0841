// The same library from C++, with an error that goes to errno.
#include <pexquo/kro.h>
#include <pexquo/pex.h>
#include <pexquo/quo.h>

#include <cerrno>
#include <vector>

int main() {
  std::vector<double> x(100, -1000.0);
  _pexSetMode(PEX_ERRMODE_ERRNO);
  errno = 0;
  _pexdExp_26(static_cast<int32_t>(x.size()), x.data(), x.data());
  return x[99] == 0 && errno == ERANGE && _pexGetErrStatus() == PEX_STATUS_UNDERFLOW &&
                 kro_serv_kro_print(1, 0, 0) == -1
             ? 0
             : 1;
}
