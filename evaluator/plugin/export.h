// Marks what a shared library of ours offers to others; all else stays hidden.
#pragma once

#define GATOTU_API __attribute__((visibility("default")))
