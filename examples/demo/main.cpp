#include <iostream>

int main() { std::cout << "demo\n"; }
