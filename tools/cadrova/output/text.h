// Values: from an argument, and as text.
#pragma once

#include <string>

#include "common/value.h"

using cadrova::tools::Value;

// `text` as a default of the kind of `zero`.
Value ParseDefault(const std::string& text, const Value& zero);

// As a shell takes it: a list has an element a line, and is nothing where it is empty.
std::string ToLines(const Value& value);

// As one line, in which a string and a number differ.
std::string ToText(const Value& value);
