bare
