"""q_Mur: functions that draw into NumPy arrays of uint32 (H, W), or of uint8 (H, W, 4) in blue, green, red, top order."""

from . import _q_mur

__version__ = _q_mur.__version__
globals().update({name: value for name, value in vars(_q_mur).items() if not name.startswith("__")})
__all__ = sorted(name for name in vars(_q_mur) if not name.startswith("__"))
