// Process state that a test changes for its own length: an environment
// variable (nullptr unsets it) and the current directory.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>

namespace ostrivane {

class ScopedEnv {
public:
    ScopedEnv(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        Set(value);
    }
    ~ScopedEnv() { Set(old_ ? old_->c_str() : nullptr); }

private:
    void Set(const char* value) { value != nullptr ? ::setenv(name_, value, 1) : ::unsetenv(name_); }
    const char* name_;
    std::optional<std::string> old_;
};

class ScopedCurrentDir {
public:
    explicit ScopedCurrentDir(const std::filesystem::path& dir) : old_(std::filesystem::current_path()) {
        std::filesystem::current_path(dir);
    }
    ~ScopedCurrentDir() { std::filesystem::current_path(old_); }

private:
    std::filesystem::path old_;
};

}  // namespace ostrivane
