// Functions of the test that every script of the tests knows.
#pragma once

namespace Vantrel::Web::Faces {

// runCase(f), done(value), wait, answer; render(value); the forms in which a page gets paths.
extern const char* const kPrelude;

}  // namespace Vantrel::Web::Faces
