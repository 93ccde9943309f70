"""A private desktop with a test camera, shared by ./run, ./test and ./bench."""
