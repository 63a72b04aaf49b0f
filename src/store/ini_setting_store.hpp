// The setting store on Linux: one INI file per application,
// <config home>/<AppName>/settings.ini.
#pragma once

#include <string>

#include "platform/setting_store.hpp"

namespace ostrivane {

class IniSettingStore final : public SettingStore {
public:
    // The config home defaults to $XDG_CONFIG_HOME, or ~/.config.
    IniSettingStore();
    explicit IniSettingStore(std::string configHome);

    std::string GetSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                           std::string_view Default) const override;
    void SaveSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                     std::string_view Setting) override;

    std::string FileFor(std::string_view AppName) const;

private:
    std::string configHome_;
};

}  // namespace ostrivane
