// A program with none of the product's hardening.
int main() { return 0; }
