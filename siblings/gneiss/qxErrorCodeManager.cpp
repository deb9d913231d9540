#include <gneiss/qxErrorCodeManager.h>

#include <system_error>

constinit qxErrorCodeManager qxExtLastError;

NUBUnicodeString qxErrorCodeManager::GetMsgError() const {
    return NUBUnicodeString(std::generic_category().message(last).c_str());
}
