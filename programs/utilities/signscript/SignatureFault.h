#pragma once

#include <string>
#include <string_view>

namespace Quorel {

// Why a text can be no signature at all, whatever the script says; empty for one
// that can.
std::string signatureFault(std::string_view signature);

}  // namespace Quorel
