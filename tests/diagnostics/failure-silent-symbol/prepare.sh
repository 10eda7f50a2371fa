cp "$TESTS"/diagnostics/symbol-unknown/app.elf .
