// What a report must not say: who its user is, and where in the network.
#pragma once

#include <string>
#include <string_view>

// The text with the folders of this account named as %LOCALAPPDATA% and the like, without the names of the user and the
// computer, and without any address but 127.0.0.1.
std::wstring WithoutNames(std::wstring_view szText);
