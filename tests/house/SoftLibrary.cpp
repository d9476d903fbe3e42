// A library with none of the product's hardening, and a fifth name.
extern "C" __attribute__((visibility("default"))) int Talk() { return 0; }
