// For the sanitized build: what the system's libraries keep until the process
// ends is theirs to keep. Leaks of our own code are still reported. Linked
// into every Qt program of the project.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libdbus-1.so\n"
           "leak:libfontconfig.so\n";
}
