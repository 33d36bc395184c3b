"""The pictures of the built-in sprites, drawn by arithmetic alone."""
