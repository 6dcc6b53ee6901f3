#include "tests/program/programtest.h"
