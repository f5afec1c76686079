#pragma once

namespace lys::eval {

/// sin(x) = x + x^3 (c[0] + c[1] x^2 + … + c[6] x^12) for 0 <= x <= pi/2. Minimax coefficients of the relative error
/// (1.6e-16, Remez exchange in 60 digits); folded over pi/2 and rounded to float the sum equals the correctly rounded
/// sine for every argument that the rainbow rules can form, with and without fused steps.
inline constexpr double sineSeries[7] = {-0.16666666666666186,   0.008333333333285542,    -0.00019841269825056267,
                                         2.7557316600553674e-06, -2.5051880273916882e-08, 1.604809540633431e-10,
                                         -7.373344546699689e-13};
inline constexpr double piInDouble = 3.14159265358979323846;

}  // namespace lys::eval
