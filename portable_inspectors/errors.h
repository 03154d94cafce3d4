// What arithmetic on the portable values may throw. Messages show the class names.
#pragma once

#include "evaluator/plugin/exceptions.h"

class GATOTU_API IntegerOverflow : public DebuggableException {};
class GATOTU_API DivisionByZero : public DebuggableException {};
class GATOTU_API FrequencyOverflow : public DebuggableException {};
class GATOTU_API TimeOverflow : public DebuggableException {};
