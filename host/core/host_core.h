/// What the stand-in parser core offers beside the parser core's own interface.
#pragma once

extern "C" {

/// Answers from the customization file at `path` from now on. To be called before the core is
/// first asked; otherwise the core reads the file that the environment variable CADROVA_HOST_DATA
/// names, or else the installed sample. A file that is missing or malformed ends the process with
/// status 2 and one line on standard error: file, line, column and what is wrong.
void cadrova_host_use_data(const char* path);

}  // extern "C"
