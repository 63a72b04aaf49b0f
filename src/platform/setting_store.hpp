// The per-user setting store: a few named values per application, kept
// apart from the data file (the data directory lives here).
#pragma once

#include <string>
#include <string_view>

namespace ostrivane {

class SettingStore {
public:
    virtual ~SettingStore() = default;
    virtual std::string GetSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                                   std::string_view Default) const = 0;
    virtual void SaveSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                             std::string_view Setting) = 0;
};

}  // namespace ostrivane
