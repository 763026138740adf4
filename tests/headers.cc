// Has nothing of its own: CMake compiles what all tests include for this program, and the other ones share it.
