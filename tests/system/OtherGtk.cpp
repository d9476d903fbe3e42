// A GTK that is not the driver's: GTK 3 and later have this function, and nothing that the test
// window needs is here.
extern "C" __attribute__((visibility("default"))) unsigned gtk_get_major_version() { return 3; }
