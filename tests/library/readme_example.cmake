# The README's C example is the program that the tests compile. Variables: README, EXAMPLE.

file(READ ${README} readme)
file(READ ${EXAMPLE} example)
string(FIND "${readme}" "```c\n${example}```" position)
if(position EQUAL -1)
    message(FATAL_ERROR "the README's example is not ${EXAMPLE}")
endif()
