// The synthcall program: everything but this entry point lives in the synthcall_app library.
#include "app/command_line.h"

int main(int argc, char** argv) { return RunCommandLine(argc, argv); }
