#include "Platform/dialog.h"

#include <cstdio>

namespace ovw::platform {

void showMessage(const char* title, const char* text) { std::fprintf(stderr, "%s: %s\n", title, text); }

} // namespace ovw::platform
