// Leak-checker suppressions of the Qt toolkit's tests. Qt, fontconfig and FreeType are built
// without sanitizers and keep caches until the process ends; LeakSanitizer reads this list when
// the tests run under it. Nothing of ours is suppressed.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libQt6Core\n"
         "leak:libQt6Gui\n"
         "leak:libQt6Widgets\n"
         "leak:libfontconfig\n"
         "leak:libfreetype\n"
         "leak:libglib-2.0\n"
         "leak:libdbus-1\n";
}
