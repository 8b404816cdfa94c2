#ifndef OVWPAINT_BRUSHFILE_H
#define OVWPAINT_BRUSHFILE_H

/// @file
/// Brushes as JSON: one object whose members are the fields of the brush by their names (see brushfields.h). Fields
/// that are left out keep the library's defaults. Names of other files are relative to the folder of the brush file.

#include "brush.h"

#include <string>
#include <string_view>

namespace ovwpaint {

/// Throws Failure, naming the file and the field, for anything that is not exactly a brush.
Brush readBrushFile(const std::string& path);
/// The same from memory. @param name what messages call the file @param folder where the files lie that it names
Brush parseBrush(std::string_view json, const std::string& name, const std::string& folder = "");
/// The brush as the text of a brush file, with every field.
std::string formatBrush(const Brush& brush);

} // namespace ovwpaint

#endif // OVWPAINT_BRUSHFILE_H
