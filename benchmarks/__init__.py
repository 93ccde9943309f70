"""Measures Vistrel beside other camera programs on a private desktop."""
