// The font system keeps a little memory from reading its configuration, once. In sanitized builds only.
extern "C" {

__attribute__((visibility("default"))) const char* __lsan_default_suppressions();
__attribute__((visibility("default"))) const char* __lsan_default_options();

const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

const char* __lsan_default_options() {
    return "print_suppressions=0";
}
}
