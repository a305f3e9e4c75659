"""Ctrl-C reaches the tests even where a shell starts them in the background, and so has it ignored."""

import signal

signal.signal(signal.SIGINT, signal.default_int_handler)
