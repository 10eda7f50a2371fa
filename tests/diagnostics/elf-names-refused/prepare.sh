cp "$TESTS"/diagnostics/elf-names-given/app.elf "$TESTS"/diagnostics/elf-names-given/patch.hex .
