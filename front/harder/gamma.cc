// Gamma and beta, with their conditions.
#include "front/draw.h"
#include "pexquo/pexquo.h"

using pexquo_front::First;
using pexquo_front::Scaled;
using pexquo_front::Shapes;

extern "C" {

#define FRONT_ALPHA_A_BETA(T) T alpha, T a, T beta
#define FRONT_P_Q_A_BETA(T) T p, T q, T a, T beta

FRONT_REAL(Gamma, 1, FRONT_ALPHA_A_BETA, (alpha, a, beta), First({Shapes(alpha), Scaled(a, beta)}))
FRONT_REAL(Beta, 1, FRONT_P_Q_A_BETA, (p, q, a, beta), First({Shapes(p, q), Scaled(a, beta)}))
}
