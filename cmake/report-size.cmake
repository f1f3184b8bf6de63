# Prints the size of the shipped control after each build.
file(SIZE "${FILE}" size)
math(EXPR kib "(${size} + 1023) / 1024")
message(STATUS "Brevantis.ocx: ${size} bytes (${kib} KiB; target 256 KiB)")
