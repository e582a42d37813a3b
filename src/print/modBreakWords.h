// Puts blanks into words that are too wide: a drawn text wraps only at blanks.
#pragma once

#include <string>
#include <string_view>

#include "platform/printing/clsPrintDevice.h"

namespace sandrel {

/// The text with a blank behind every piece of a word that, with one wide letter before it, reaches
/// `width`, in the unit in force on the device. A text that grows must not become narrower there.
std::string BreakWords(std::string_view text, double width, clsPrintDevice& device);

}  // namespace sandrel
