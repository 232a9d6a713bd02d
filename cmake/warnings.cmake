# The warnings that every file of ours is built with.
set(arrlib_warnings -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Werror)
