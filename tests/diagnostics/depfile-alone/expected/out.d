out.d: \
  script.tsn \
  app.elf \
  raw.bin
