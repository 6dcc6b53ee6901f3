/// @file
/// How this program has the library.
#pragma once

namespace ends
{
/// Whether it is a shared one, or a part of the program.
bool isLibraryShared();
}
