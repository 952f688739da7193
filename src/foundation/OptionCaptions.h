#pragma once

#include <QString>

namespace brimsett {

// The wording the options screen shows for each numbered switch ("Option" + n) and each
// chart label switch ("OptionChartLabel" + n). n counts from 1; out of range gives "".
QString optionCaption(int n);
QString chartLabelCaption(int n);

}  // namespace brimsett
