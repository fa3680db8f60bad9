// SPDX-License-Identifier: MIT
//
// The methods of `jwcg simplify` and `jwcg smooth`. A method is one row: its name, the parameters
// that it takes, and what the help says about it; a parameter is one row for each command.
#ifndef JWCG_LINE_METHODS_H
#define JWCG_LINE_METHODS_H

#include <vector>

#include "settings.h"

namespace jws::cli {

/// What a parameter may be.
enum class Range { Positive, NotNegative, Any, Count, CountFrom2, OddFrom3, Degree };

struct Parameter {
    const char* name;
    const char* type;
    Range range;
    const char* help;
};

/// A parameter of a method; one that has a standard need not be given.
struct Use {
    const char* name;
    bool required = true;
    double standard = 0;
    Range range = Range::Any;  ///< narrower than that of the parameter, for this method
};

struct Method {
    const char* name;
    int code;
    std::vector<Use> uses;
    const char* text;  ///< what it does, and what its parameters mean to it
    const char* example;
};

/// One of the two commands: its parameters, and its methods with the standard one first.
struct Family {
    const char* command;
    LineSettings Settings::*settings;
    const char* phase;  ///< what the progress line says
    std::vector<Parameter> parameters;
    std::vector<Method> methods;
};

/// The rows of each command; the codes are the library's.
const Family& simplification();
const Family& smoothing();

/// Whether a value is in a range, and what the range is called in messages.
bool isWithin(Range range, double value);
const char* nameOf(Range range);

}  // namespace jws::cli

#endif  // JWCG_LINE_METHODS_H
