// What the byte and text toolkit may throw. None carries data: the name of the class says it all.
#pragma once

#include "evaluator/plugin/exceptions.h"

// A byte was read or stored past the end of a writable range.
class GATOTU_API DataOverflow : public DebuggableException {};
// More bytes than a fixed capacity holds.
class GATOTU_API ConstDataCapacityExceeded : public DebuggableException {};
// A text whose size, with its NUL, does not fit in 32 bits.
class GATOTU_API StringyLengthTooLong : public DebuggableException {};
// The area of a finite stack is exhausted.
class GATOTU_API StackFull : public DebuggableException {};
class GATOTU_API NotANumeral : public DebuggableException {};
class GATOTU_API NumeralTooLarge : public DebuggableException {};
