// What the core asks of the platform when an instance is created. Browser's thread only.
#pragma once

namespace Vantrel::Web {

// Moves the process's working directory to the user's home; a failure is one log line.
void changeToHomeDirectory();

// USER32's function SetLayeredWindowAttributes, or null where it is absent.
void* findSetLayeredWindowAttributes();

}  // namespace Vantrel::Web
