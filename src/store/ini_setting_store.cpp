#include "store/ini_setting_store.hpp"

#include "lib/path_basics.hpp"
#include "lib/profile.hpp"

namespace ostrivane {

namespace {
constexpr int kAppDataFolder = 26;
}

IniSettingStore::IniSettingStore() : IniSettingStore(lib_GetSpecialFolder(kAppDataFolder)) {}

IniSettingStore::IniSettingStore(std::string configHome) : configHome_(std::move(configHome)) {}

std::string IniSettingStore::FileFor(std::string_view AppName) const {
    return lib_JoinPath(lib_JoinPath(configHome_, std::string(AppName), true), "settings.ini", true);
}

std::string IniSettingStore::GetSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                                        std::string_view Default) const {
    return lib_ProfileGetString(std::string(Section), std::string(Key), std::string(Default), FileFor(AppName));
}

void IniSettingStore::SaveSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                                  std::string_view Setting) {
    const std::string file = FileFor(AppName);
    lib_MakePath(lib_GetFolder(file, true, true));
    lib_ProfileWriteString(std::string(Section), std::string(Key), std::string(Setting), file);
}

}  // namespace ostrivane
