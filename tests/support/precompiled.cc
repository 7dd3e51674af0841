// The owner of the tests' precompiled headers.
int main() {}
