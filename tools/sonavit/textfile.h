#pragma once

#include <string>

namespace sonavit::program
{
/// The whole file @p path, which is UTF-8. Throws OperationFailure if it cannot be read.
std::string readFile(const std::string& path);

/// Writes @p text to the file @p path, which is UTF-8. Throws OperationFailure if it cannot be written.
void writeFile(const std::string& path, const std::string& text);

/// The same by way of a further file in the same folder, "PATH.part", so that a file that exists is replaced as a whole
/// or not at all. What is no regular file, such as a pipe, is written directly.
void replaceFile(const std::string& path, const std::string& text);
}
