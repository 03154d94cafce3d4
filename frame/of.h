// Tells a function that reads a property of an object from one that looks something up by it:
// `Prop` takes `R (*)(Of, O const&)` for a property of O.
#pragma once

struct Of {};
