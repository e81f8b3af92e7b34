// A C++ program that does nothing, with the C++ library: what the start of kelo_manager_life is measured against.
#include <iostream>

int main() { std::cout.flush(); }
