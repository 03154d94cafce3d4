// Marks what the machine offers beyond its shared library; all else stays hidden.
#pragma once

#define MACHINE_API __attribute__((visibility("default")))
