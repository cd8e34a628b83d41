#include <cstdio>
int main() { std::printf("Vantrel Photo\n"); return 0; }
