#pragma once
// The interpreter's object type, named without including Python.h (which must come first in any
// source that includes it and so stays out of the platform's headers).
struct _object;
using PyObject = _object;
