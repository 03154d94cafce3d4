// All of the BSD calls that we have.
#pragma once

#include <BSD/environment.h>
#include <BSD/stdlib.h>
#include <BSD/sysctl.h>
#include <BSD/unistd.h>
