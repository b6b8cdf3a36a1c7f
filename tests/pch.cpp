// Exists so that one precompiled header can be shared by every test program.
