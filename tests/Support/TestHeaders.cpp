// Stands for the headers that are read once for all tests.
