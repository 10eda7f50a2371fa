out.elf out.axf: \
  script.tsn \
  app.elf \
  template.elf
