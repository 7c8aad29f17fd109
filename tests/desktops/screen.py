"""Compares pictures of a screen."""
import pathlib
import subprocess

VISIBLE = 10  # difference of two color values
BANNER = 1000  # color values of a picture of half the size; a clock or a tray icon changes fewer, a banner more


def _pixels(path: pathlib.Path) -> bytes:
    return subprocess.run(["convert", str(path), "-alpha", "off", "-sample", "50%", "-depth", "8", "rgb:-"], check=True,
                          capture_output=True).stdout


def shows_banners(empty: pathlib.Path, picture: pathlib.Path, within: pathlib.Path = None) -> bool:
    """Whether the picture differs from the empty screen. With `within`, only where that picture differs too."""
    background, pixels = _pixels(empty), _pixels(picture)
    mask = _pixels(within) if within else pixels
    changed = sum(1 for a, b, c in zip(background, pixels, mask)
                  if a != b and abs(a - b) > VISIBLE and abs(a - c) > VISIBLE)
    return changed > BANNER
