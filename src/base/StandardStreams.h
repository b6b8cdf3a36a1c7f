#pragma once

namespace quillmar {

/// Gives a program that was started without standard input, output or errors something in their place, so
/// that no file or connection gets their number and is then written into by mistake. Reading and writing
/// there fail as before; a reader that has gone is such a failure and no longer the program's end. To be
/// called before anything is opened.
void occupyStandardStreams();

}  // namespace quillmar
