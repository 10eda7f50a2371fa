" Vim syntax file
" Language: Tessaron scripts, which prepare images for flash memory
" Filenames: *.tsn

if exists("b:current_syntax")
  finish
endif

let s:cpo_save = &cpo
set cpo&vim

syntax case match
syntax sync fromstart
" The characters of a name, so that \< before a keyword does not match inside a name.
syntax iskeyword 48-57,65-90,97-122,35,@-@,95,45,33,60,62,38

" Where two items match at one place, Vim takes the one that is defined last.

" Tokens that are legal anywhere. A word that is nothing else must be a variable.
syntax match tessaronVariable /[A-Za-z_#@!<>&][A-Za-z0-9_#@!<>&]*/
syntax match tessaronDelimiter /[{}();,]/
syntax match tessaronOperator "[-+*/%=]"
syntax match tessaronNumber /[0-9]\+/
syntax match tessaronNumber /0*[xX][0-9A-Fa-f]\+[A-Za-z0-9_]\@!/

" A file among the values of an INCLUDE.
syntax match tessaronFileText "\v%(%(//)@![^ \t,;(){}='\"])*\.%(%(//)@![^ \t,;(){}='\"])*"

" Numbers of images and symbols. A sign that a name may have can be an operator here.
syntax match tessaronFunction "\v[A-Za-z0-9#@_!<>&]@<!%(startOf|endOf|lengthOf|firstWritten|lastWritten)%(\s*\()@="
      \ nextgroup=tessaronImageDelimiter skipwhite
syntax match tessaronImageDelimiter /(/ contained nextgroup=tessaronName skipwhite
syntax match tessaronFunction "\v[A-Za-z0-9#@_!<>&]@<!%(symbolOf|sizeOf)%(\s*\()@="
      \ nextgroup=tessaronFileDelimiter skipwhite
syntax match tessaronFileDelimiter /(/ contained nextgroup=tessaronSymbolFileText skipwhite
syntax match tessaronSymbolFileText #\v%(\{[^}]*\}|["'][^"']*["']|[^ \t,(){}"']+)# contained
      \ nextgroup=tessaronSymbolDelimiter skipwhite
syntax match tessaronSymbolDelimiter /,/ contained nextgroup=tessaronSymbolText skipwhite
syntax match tessaronSymbolText #\v%(\{[^}]*\}|["'][^"']*["']|[^ \t,(){}"']+)# contained

" Names, after a keyword or in a list.
syntax match tessaronName /\k\+/ contained
syntax match tessaronSymbol /@\k\+/ contained
syntax match tessaronNameComment "//.*" contained
      \ nextgroup=tessaronName,tessaronNameComment skipwhite skipempty
syntax match tessaronNamesEquals /=/ contained nextgroup=tessaronNames skipwhite skipempty
syntax region tessaronNames matchgroup=tessaronDelimiter start=/{/ end=/}/ contained
      \ contains=tessaronComment,tessaronName,tessaronSeparator
syntax match tessaronSeparator /[,;]/ contained

" Numbers and areas in braces.
syntax match tessaronNumbersEquals /=/ contained nextgroup=tessaronNumbers skipwhite skipempty
syntax region tessaronNumbers matchgroup=tessaronDelimiter start=/{/ end=/}/ contained
      \ contains=tessaronComment,tessaronNumbers,tessaronNumber,tessaronOperator,tessaronVariable,
      \tessaronDelimiter,tessaronFunction

" The name of a CRC, which looks like an expression.
syntax region tessaronCatalogue matchgroup=tessaronDelimiter start=/{/ end=/}/ contained
      \ contains=tessaronComment,tessaronCatalogueConstant
syntax match tessaronCatalogueConstant "\v%(%(//)@![A-Za-z0-9/-])+" contained

" Texts: bare, in quotes that do not pair, in braces. Comments win over all of them.
syntax cluster tessaronTextParts contains=tessaronComment,tessaronDirective
syntax match tessaronBareText "\v%(%(//)@!\S)+" contained
syntax region tessaronQuotedText start=/["']["']\@!/ end="\v[\"']%(%(//)@!\S)*" contained
      \ contains=@tessaronTextParts
syntax region tessaronBracedText start=/{}\@!/ end=/}/ contained contains=@tessaronTextParts
syntax match tessaronTextComment "//.*" contained
      \ nextgroup=tessaronBareText,tessaronQuotedText,tessaronBracedText,tessaronTextComment
      \ skipwhite skipempty

" The same for arguments, into which values are put.
syntax match tessaronArgumentBareText "\v%(%(//)@!\S)+" contained contains=tessaronSymbol
syntax region tessaronArgumentQuotedText start=/["']["']\@!/ end="\v[\"']%(%(//)@!\S)*" contained
      \ contains=@tessaronTextParts,tessaronSymbol
syntax region tessaronArgumentBracedText start=/{}\@!/ end=/}/ contained
      \ contains=@tessaronTextParts,tessaronSymbol
syntax match tessaronArgumentComment "//.*" contained
      \ nextgroup=tessaronArgumentBareText,tessaronArgumentQuotedText,tessaronArgumentBracedText,
      \tessaronArgumentComment skipwhite skipempty

" And for printed texts, in which an expression in brackets is calculated as well.
syntax region tessaronCalculation matchgroup=tessaronDelimiter start=/\[/ end=/\]/ end=/\ze[}"']/
      \ contains=tessaronComment,tessaronNumber,tessaronOperator,tessaronVariable,
      \tessaronSymbol,tessaronDelimiter
syntax match tessaronPrintedBareText "\v%(%(//)@!\S)+" contained
      \ contains=tessaronSymbol,tessaronCalculation
syntax region tessaronPrintedQuotedText start=/["']["']\@!/ end="\v[\"']%(%(//)@!\S)*" contained
      \ contains=@tessaronTextParts,tessaronSymbol,tessaronCalculation
syntax region tessaronPrintedBracedText start=/{}\@!/ end=/}/ contained
      \ contains=@tessaronTextParts,tessaronSymbol,tessaronCalculation
syntax match tessaronPrintedComment "//.*" contained
      \ nextgroup=tessaronPrintedBareText,tessaronPrintedQuotedText,tessaronPrintedBracedText,
      \tessaronPrintedComment skipwhite skipempty

" The text of WITH_STRING ends with its quote.
syntax region tessaronStringText start=/["']["']\@!/ end=/["']/ contained
      \ contains=@tessaronTextParts
syntax match tessaronStringComment "//.*" contained
      \ nextgroup=tessaronStringText,tessaronStringComment skipwhite skipempty

" Values of options.
syntax match tessaronConstant /\v<%(LittleEndian|BigEndian)/
syntax match tessaronConstant /\v%(<-onOverlap\s*\=\s*)@<=%(Last|First|Same|Error)/
syntax match tessaronConstant /\v<%(InterpretAsLittleEndian|InterpretAsBigEndian)/
syntax match tessaronConstant /\v<%(RawBinary|TiTxt|DfuSe|Elf|Uf2_\k+|Uf2|%(IntelHexExtended|IntelHexSegment|EmbeddedC_Assembler|MotorolaS|Vmem|Mif|Coe|HexDump|CArray16|CArray32|CArray64|CArray)_?)/
syntax match tessaronConstant /\v<%(Crc8_Standard|Crc8_OnesComplement|Crc8_TwosComplement|Crc8_Eeprom)/
syntax match tessaronConstant /\v<%(Crc16_Standard|Crc16_OnesComplement_BE|Crc16_TwosComplement_BE|Crc16_Legacy_Karst_Brae|Crc16_Ccitt|Crc16_ibm_sdlc)/
syntax match tessaronConstant /\v<%(Crc32_Standard|Crc32_Tolmen|Crc32_Ethernet_Mpeg2|Crc32_Vector_AUTOSAR)/
syntax match tessaronConstant /\v<%(Adler32|Fletcher16|Fletcher32|WordSum16_OnesComplement|WordSum16_TwosComplement|WordSum16|WordSum32_OnesComplement|WordSum32_TwosComplement|WordSum32)/
syntax match tessaronConstant /\v<%(ByteSum16_OnesComplement|ByteSum16_TwosComplement|ByteSum32_OnesComplement|ByteSum32_TwosComplement)/
syntax match tessaronConstant /\v%(<-setAlignment\s*\=\s*)@<=%(LeftWithOnes|Left|Right)/
syntax match tessaronConstant /\v<%(DataLength|Custom|true|false)/
syntax match tessaronConstant /\v<Catalogue/ nextgroup=tessaronCatalogue skipwhite
syntax match tessaronConstant /\v<%(Hash_Md2|Hash_Md4|Hash_Md5|Hash_Md6|Hash_Gost_256|Hash_Sha1|Hash_Shake)/
syntax match tessaronConstant /\v<%(Hash_Ripemd_128|Hash_Ripemd_160|Hash_Ripemd_256|Hash_Ripemd_320)/
syntax match tessaronConstant /\v<%(Hash_Sha2_224|Hash_Sha2_256|Hash_Sha2_384|Hash_Sha2_512)/
syntax match tessaronConstant /\v<%(Ed25519|EcdsaP256_Sha256|EcdsaP384_Sha384|RsaPss_Sha256|RsaPkcs1_Sha256)/
syntax match tessaronConstant /\v%(<-setSignatureForm\s*\=\s*)@<=%(Raw|Der)/
syntax match tessaronConstant /\v<%(Hash_Sha3_224|Hash_Sha3_256|Hash_Sha3_384|Hash_Sha3_512)/

" Options.
syntax match tessaronSection /\.\?\k\+/ contained
syntax match tessaronSectionEquals /=/ contained nextgroup=tessaronSection skipwhite skipempty
syntax match tessaronOption /\v<%(-changeStartAddressTo|-setByteOrder|-setType|-setFormat|-skipUnwritten|-onOverlap|-useWordSize|-interleave|-swapBytes|-setAddressUnit|-fillGapsUpTo|-alignTo|-setAlignment|-setVendorId|-setProductId|-setElfTemplate|-setValueSize|-useSections|-skipSections|-useFamily|-setSignatureForm)/
syntax match tessaronOption /\v<%(-setExecutionAddress|-setArrayName|-setIncludeGuard)/
      \ nextgroup=tessaronSectionEquals skipwhite skipempty
syntax match tessaronOption /\v<%(-useAreas|-useBufferRange|-useLane)/
      \ nextgroup=tessaronNumbersEquals skipwhite skipempty
syntax match tessaronHeaderEquals /=/ contained
      \ nextgroup=tessaronBareText,tessaronQuotedText,tessaronBracedText skipwhite skipempty
syntax match tessaronOption /\v<%(-setHeaderText|-setKeyFile)/
      \ nextgroup=tessaronHeaderEquals skipwhite skipempty
syntax match tessaronOption /\v<-resolveSymbolsAsHexValue/
      \ nextgroup=tessaronNamesEquals skipwhite skipempty

" Sources.
syntax match tessaronSource /\v<EMPTY/
syntax match tessaronSource /\v<%(WITH_CRC|WITH_HASH|WITH_SIGNATURE|WITH_BUFFER|FROM_BUFFER|FROM_STORED)/
      \ nextgroup=tessaronName,tessaronNameComment skipwhite skipempty
syntax match tessaronSource "\v<%(FROM_BUFFERS%(\s*%(\{|$|//))@=|WITH_BUFFERS)"
      \ nextgroup=tessaronNames skipwhite skipempty
syntax match tessaronSource /\v<%(FROM_VALUES|WITH_FILLER|WITH_VALUES)/
      \ nextgroup=tessaronNumbers skipwhite skipempty
syntax match tessaronSource /\v<%(FROM_FILE_BINARY|FROM_FILE|FROM_ELF|FROM_UF2|FROM_TI_TXT|FROM_VMEM|FROM_DFUSE|FROM_KEY)/
      \ nextgroup=tessaronBareText,tessaronQuotedText,tessaronBracedText,tessaronTextComment
      \ skipwhite skipempty
syntax match tessaronSource /\v<WITH_ARGUMENTS/
      \ nextgroup=tessaronArgumentBareText,tessaronArgumentQuotedText,tessaronArgumentBracedText,
      \tessaronArgumentComment skipwhite skipempty
syntax match tessaronSource /\v<WITH_STRING/
      \ nextgroup=tessaronStringText,tessaronStringComment skipwhite skipempty

" Statements.
syntax match tessaronStatement /\v<CALCULATE/
syntax match tessaronStatement /\v<%(NEW_BUFFER|FILL_BUFFER|VERIFY_BUFFER|NEW_CRC|NEW_HASH|PRINT_BUFFER|PRINT_CRC|PRINT_HASH|NEW_SIGNATURE|PRINT_SIGNATURE|VERIFY_SIGNATURE)/
      \ nextgroup=tessaronName,tessaronNameComment skipwhite skipempty
syntax match tessaronStatement /\v<PRINT_TEXT/
      \ nextgroup=tessaronPrintedBareText,tessaronPrintedQuotedText,tessaronPrintedBracedText,
      \tessaronPrintedComment skipwhite skipempty
syntax match tessaronStatement /\v<%(WRITE_FILE|CALL_APP)/
      \ nextgroup=tessaronBareText,tessaronQuotedText,tessaronBracedText,tessaronTextComment
      \ skipwhite skipempty

" SUBSTITUTE name WITH value: the last WITH of the line counts.
syntax match tessaronDirective "\vSUBSTITUTE%( %(%(//)@!.)* WITH )@="
      \ nextgroup=tessaronSubstitution
syntax match tessaronSubstitution "\v %(%(//)@!.)*%( WITH )@=" contained
      \ nextgroup=tessaronDirectiveWith
syntax match tessaronDirectiveWith / WITH / contained nextgroup=tessaronSubstitutionText
syntax match tessaronSubstitutionText "\v%(%(//)@!.)*" contained

" PARAMETER name DEFAULT value and INCLUDE file WITH { ... }, which begin a line.
syntax match tessaronParameterDirective "\v^[ \t]*\zsPARAMETER\k@!"
      \ nextgroup=tessaronParameterSubstitution skipwhite
syntax match tessaronParameterSubstitution /\k\+/ contained
      \ nextgroup=tessaronDefaultDirective skipwhite
syntax match tessaronDefaultDirective /DEFAULT\k\@!/ contained
      \ nextgroup=tessaronDefaultText skipwhite
syntax match tessaronDefaultText "\v%(%(//)@!.)+" contained
syntax match tessaronIncludeDirective "\v^[ \t]*\zsINCLUDE\k@!"
      \ nextgroup=tessaronPathText skipwhite
syntax match tessaronPathText #\v%(\{[^}]*\}|["'][^"']*["']|%(%(//)@!\S)+)# contained
      \ nextgroup=tessaronIncludeWithDirective skipwhite
syntax match tessaronIncludeWithDirective /WITH\k\@!/ contained

" Comments end with their line, also in quotes and braces.
syntax match tessaronComment "//.*"

highlight default link tessaronComment Comment
highlight default link tessaronNameComment Comment
highlight default link tessaronTextComment Comment
highlight default link tessaronArgumentComment Comment
highlight default link tessaronPrintedComment Comment
highlight default link tessaronStringComment Comment
highlight default link tessaronDirective PreProc
highlight default link tessaronDirectiveWith PreProc
highlight default link tessaronSubstitution Macro
highlight default link tessaronSubstitutionText String
highlight default link tessaronParameterDirective PreProc
highlight default link tessaronParameterSubstitution Macro
highlight default link tessaronDefaultDirective PreProc
highlight default link tessaronDefaultText String
highlight default link tessaronIncludeDirective PreProc
highlight default link tessaronPathText String
highlight default link tessaronIncludeWithDirective PreProc
highlight default link tessaronStatement Statement
highlight default link tessaronSource Keyword
highlight default link tessaronOption Type
highlight default link tessaronConstant Constant
highlight default link tessaronCatalogueConstant Constant
highlight default link tessaronName Identifier
highlight default link tessaronSymbol Identifier
highlight default link tessaronSection Identifier
highlight default link tessaronVariable Macro
highlight default link tessaronNumber Number
highlight default link tessaronFunction Function
highlight default link tessaronImageDelimiter Delimiter
highlight default link tessaronFileDelimiter Delimiter
highlight default link tessaronSymbolDelimiter Delimiter
highlight default link tessaronSymbolFileText String
highlight default link tessaronFileText String
highlight default link tessaronSymbolText String
highlight default link tessaronOperator Operator
highlight default link tessaronNamesEquals Operator
highlight default link tessaronNumbersEquals Operator
highlight default link tessaronSectionEquals Operator
highlight default link tessaronHeaderEquals Operator
highlight default link tessaronDelimiter Delimiter
highlight default link tessaronSeparator Delimiter
highlight default link tessaronBareText String
highlight default link tessaronQuotedText String
highlight default link tessaronBracedText String
highlight default link tessaronArgumentBareText String
highlight default link tessaronArgumentQuotedText String
highlight default link tessaronArgumentBracedText String
highlight default link tessaronPrintedBareText String
highlight default link tessaronPrintedQuotedText String
highlight default link tessaronPrintedBracedText String
highlight default link tessaronStringText String

let b:current_syntax = "tessaron"

let &cpo = s:cpo_save
unlet s:cpo_save
