// A setting store held in memory, for tests.
#pragma once

#include <map>
#include <string>
#include <tuple>

#include "lib/text.hpp"
#include "platform/setting_store.hpp"

namespace ostrivane::fakes {

class MemorySettingStore final : public SettingStore {
public:
    std::string GetSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                           std::string_view Default) const override {
        const auto it = values_.find(KeyOf(AppName, Section, Key));
        return it == values_.end() ? std::string(Default) : it->second;
    }
    void SaveSetting(std::string_view AppName, std::string_view Section, std::string_view Key,
                     std::string_view Setting) override {
        values_[KeyOf(AppName, Section, Key)] = std::string(Setting);
    }

private:
    using Key3 = std::tuple<std::string, std::string, std::string>;
    static Key3 KeyOf(std::string_view a, std::string_view s, std::string_view k) {
        return {UCase(a), UCase(s), UCase(k)};
    }
    std::map<Key3, std::string> values_;
};

}  // namespace ostrivane::fakes
