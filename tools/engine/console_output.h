// Where the lines of the page's console go.
#pragma once

#include <string>

namespace engine {

// Takes the descriptor that the launcher has made of its standard output; the process's own leads
// to the standard error. Wine hands that one to every program that the plug-in starts, so who reads
// the console would not see its end before the last of those programs had ended.
void usePageConsole(int descriptor);

// Writes the line and a line feed at once; a line feed inside is written as a backslash and an n.
void printConsoleLine(const std::string& line);

}  // namespace engine
