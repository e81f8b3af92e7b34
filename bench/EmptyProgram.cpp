// A C++ program that does nothing: what the start of kelo_manager_life is measured against.
int main() {}
