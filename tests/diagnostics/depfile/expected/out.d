out\ put.bin: \
  script.tsn \
  app.elf \
  in\ put\#$$.bin
