"""One example for the documentation of each function; the tests run them."""

EXAMPLES = {
    "add": """
>>> pexquo.add([1.0, 2.0], 0.5)
array([1.5, 2.5])
""",
    "subtract": """
>>> pexquo.subtract([1.0, 2.0], 0.5)
array([0.5, 1.5])
""",
    "multiply": """
>>> pexquo.multiply([1.0, 2.0], 0.5)
array([0.5, 1. ])
""",
    "square": """
>>> pexquo.square([1.5, -2.0])
array([2.25, 4.  ])
""",
    "absolute": """
>>> pexquo.absolute([-1.5, 2.0])
array([1.5, 2. ])
""",
    "ceil": """
>>> pexquo.ceil([-1.5, 1.2])
array([-1.,  2.])
""",
    "floor": """
>>> pexquo.floor([-1.5, 1.2])
array([-2.,  1.])
""",
    "trunc": """
>>> pexquo.trunc([-1.5, 1.7])
array([-1.,  1.])
""",
    "rint": """
>>> pexquo.rint([0.5, 1.5, 2.5])
array([0., 2., 2.])
""",
    "nearbyint": """
>>> pexquo.nearbyint([0.5, 1.5, 2.5])
array([0., 2., 2.])
""",
    "round_away": """
>>> pexquo.round_away([0.5, 1.5, -2.5])
array([ 1.,  2., -3.])
""",
    "modf": """
>>> pexquo.modf([1.25, -2.5])
(array([ 0.25, -0.5 ]), array([ 1., -2.]))
""",
    "exp": """
>>> pexquo.exp([0.0, 1.0])
array([1.        , 2.71828183])
""",
    "expm1": """
>>> pexquo.expm1(1e-10)
1.00000000005e-10
""",
    "log": """
>>> pexquo.log([1.0, 10.0])
array([0.        , 2.30258509])
""",
    "log10": """
>>> pexquo.log10([1.0, 1000.0])
array([0., 3.])
""",
    "log1p": """
>>> pexquo.log1p(1e-10)
9.999999999500001e-11
""",
    "sin": """
>>> pexquo.sin([0.0, 0.5])
array([0.        , 0.47942554])
""",
    "cos": """
>>> pexquo.cos([0.0, 0.5])
array([1.        , 0.87758256])
""",
    "sincos": """
>>> pexquo.sincos(0.5)
(0.479425538604203, 0.8775825618903728)
""",
    "tan": """
>>> pexquo.tan([0.0, 0.5])
array([0.        , 0.54630249])
""",
    "power": """
>>> pexquo.power([2.0, 3.0], [0.5, 4.0])
array([ 1.41421356, 81.        ])
""",
    "powx": """
>>> pexquo.powx([2.0, 3.0], 0.5)
array([1.41421356, 1.73205081])
""",
    "pow2o3": """
>>> pexquo.pow2o3([8.0, 27.0])
array([4., 9.])
""",
    "pow3o2": """
>>> pexquo.pow3o2([4.0, 9.0])
array([ 8., 27.])
""",
    "sqrt": """
>>> pexquo.sqrt([2.0, 9.0])
array([1.41421356, 3.        ])
""",
    "invsqrt": """
>>> pexquo.invsqrt([4.0, 16.0])
array([0.5 , 0.25])
""",
    "cbrt": """
>>> pexquo.cbrt([2.0, 27.0])
array([1.25992105, 3.        ])
""",
    "invcbrt": """
>>> pexquo.invcbrt([8.0, 27.0])
array([0.5       , 0.33333333])
""",
    "reciprocal": """
>>> pexquo.reciprocal([4.0, 10.0])
array([0.25, 0.1 ])
""",
    "divide": """
>>> pexquo.divide([1.0, 2.0], 3)
array([0.33333333, 0.66666667])
""",
    "hypot": """
>>> pexquo.hypot([3.0, 1e200], [4.0, 1e200])
array([5.00000000e+000, 1.41421356e+200])
""",
    "arccos": """
>>> pexquo.arccos([0.5, 1.0])
array([1.04719755, 0.        ])
""",
    "arcsin": """
>>> pexquo.arcsin([0.5, 1.0])
array([0.52359878, 1.57079633])
""",
    "arctan": """
>>> pexquo.arctan([0.5, 1.0])
array([0.46364761, 0.78539816])
""",
    "arctan2": """
>>> pexquo.arctan2([1.0, -1.0], [1.0, -1.0])
array([ 0.78539816, -2.35619449])
""",
    "arccosh": """
>>> pexquo.arccosh([1.0, 2.0])
array([0.       , 1.3169579])
""",
    "arcsinh": """
>>> pexquo.arcsinh([0.5, 1.0])
array([0.48121183, 0.88137359])
""",
    "arctanh": """
>>> pexquo.arctanh([0.0, 0.5])
array([0.        , 0.54930614])
""",
    "cosh": """
>>> pexquo.cosh([0.0, 1.0])
array([1.        , 1.54308063])
""",
    "sinh": """
>>> pexquo.sinh([0.0, 1.0])
array([0.        , 1.17520119])
""",
    "tanh": """
>>> pexquo.tanh([0.0, 1.0])
array([0.        , 0.76159416])
""",
    "erf": """
>>> pexquo.erf([0.5, 1.0])
array([0.52049988, 0.84270079])
""",
    "erfc": """
>>> pexquo.erfc([0.5, 10.0])
array([4.79500122e-01, 2.08848758e-45])
""",
    "cdfnorm": """
>>> pexquo.cdfnorm([0.0, 1.96])
array([0.5      , 0.9750021])
""",
    "erfinv": """
>>> pexquo.erfinv([0.5, 0.9])
array([0.47693628, 1.16308715])
""",
    "erfcinv": """
>>> pexquo.erfcinv([0.5, 1e-10])
array([0.47693628, 4.57282497])
""",
    "cdfnorminv": """
>>> pexquo.cdfnorminv([0.5, 0.975])
array([0.        , 1.95996398])
""",
    "mulbyconj": """
>>> pexquo.mulbyconj([1 + 2j], [3 + 4j])
array([11.+2.j])
""",
    "conjugate": """
>>> pexquo.conjugate([1 + 2j])
array([1.-2.j])
""",
    "angle": """
>>> pexquo.angle([1j, -1.0])
array([1.57079633, 3.14159265])
""",
    "cis": """
>>> pexquo.cis([0.0, 0.5])
array([1.        +0.j        , 0.87758256+0.47942554j])
""",
}
