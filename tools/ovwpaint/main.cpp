#include "program.h"

int main(int argc, char** argv) { return ovwpaint::runProgram(argc, argv); }
