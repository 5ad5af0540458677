// The same provider compiled as C++: the macros must expand to valid C++ too.
#include "SampleProvider.c"
