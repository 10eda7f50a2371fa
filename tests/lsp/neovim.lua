-- A session of Neovim with the language server of the program TESSARON, in the folder WORK: every
-- feature once, then EDITS random edits, after each of which an answer is valid and the diagnostics are
-- those of `tessaron check` for the text at that moment.
--
-- The first line of the script fails whenever it runs, so that `check` says what it finds before the
-- run and that, and nothing else.
local program, work, edits = vim.env.TESSARON, vim.env.WORK, tonumber(vim.env.EDITS)
local timeout = 20000
local uri = vim.uri_from_fname(work .. "/script.tsn")
local published, exit = {}, nil

local function fail(...)
  local words = {}
  for _, word in ipairs({...}) do
    words[#words + 1] = type(word) == "string" and word or vim.inspect(word)
  end
  io.stderr:write(table.concat(words, " "), "\n")
  local file = io.open(work .. "/failed.tsn", "w")
  file:write(table.concat(vim.api.nvim_buf_get_lines(0, 0, -1, true), "\n"))
  file:close()
  vim.cmd("cquit 1")
end

local function equal(what, got, wanted)
  if not vim.deep_equal(got, wanted) then fail(what .. ": got", got, "instead of", wanted) end
end

local function text_of(lines) return table.concat(lines, "\n") .. "\n" end

local base = {
  "NEW_BUFFER @guard FROM_FILE missing.hex",
  "PRINT_BUFFER @guard // so that it is used",
  "SUBSTITUTE SIZE WITH 0x100",
  "NEW_BUFFER @App FROM_VALUES { 1, 2, 3, 4 } -useBufferRange={0, SIZE}",
  "INCLUDE part.tsn WITH { image=@App, limit=8 }",
  "NEW_CRC @Crc FROM_BUFFER @App -useAreas={{0, 0x80}}",
  "    -setType=Catalogue{CRC-16/MODBUS}",
  "FILL_BUFFER @App WITH_CRC @Crc -useAreas={{0xFC, 2}}",
  "PRINT_TEXT {CRC @Crc} -resolveSymbolsAsHexValue={@Crc}",
  "WRITE_FILE out.hex WITH_BUFFERS { @App }",
}
local part = "PARAMETER image\nPARAMETER limit DEFAULT 4\n// of a part\nNEW_BUFFER @Part FROM_BUFFER image\n" ..
  "PRINT_BUFFER @Part -useAreas={{0, limit}}\n"

local function write(name, text)
  local file = assert(io.open(work .. "/" .. name, "w"))
  file:write(text)
  file:close()
end

vim.cmd("cd " .. vim.fn.fnameescape(work))
write("script.tsn", text_of(base))
write("part.tsn", part)
vim.cmd("silent edit script.tsn")
local client = vim.lsp.start_client({
  cmd = {program, "lsp"},
  root_dir = work,
  flags = {debounce_text_changes = 0},
  handlers = {["textDocument/publishDiagnostics"] = function(_, result) published[result.uri] = result end},
  on_exit = function(code) exit = code end,
  on_error = function(code, err) fail("the client met", code, err) end,
})
vim.lsp.buf_attach_client(0, client)

local function diagnostics()
  local buffer = vim.api.nvim_get_current_buf()
  local is_there = vim.wait(timeout, function()
    local version = vim.lsp.util.buf_versions[buffer]
    return version and published[uri] and published[uri].version == version
  end, 1)
  if not is_there then fail("there are no diagnostics of the last version") end
  return published[uri].diagnostics
end

local function ask(method, params)
  params.textDocument = {uri = uri}
  local answers = vim.lsp.buf_request_sync(0, "textDocument/" .. method, params, timeout)
  local answer = answers and answers[client]
  if not answer then fail("no answer to", method) end
  -- A name that cannot be changed is refused.
  if answer.error and answer.error.code ~= -32803 then fail(method, params, "was answered by", answer.error) end
  return answer.result
end

-- Where a text begins, `shift` columns on.
local function at(text, shift)
  for number, line in ipairs(vim.api.nvim_buf_get_lines(0, 0, -1, true)) do
    local found = line:find(text, 1, true)
    if found then return {position = {line = number - 1, character = found - 1 + (shift or 0)}} end
  end
  fail("there is no " .. text)
end

local function replace(line, from, last, to, lines)
  vim.api.nvim_buf_set_text(0, line, from, last, to, lines)
end

local function reset() vim.api.nvim_buf_set_lines(0, 1, -1, true, vim.list_slice(base, 2)) end

-- The UTF-16 units of the first characters of a line, all of it at most.
local function units(line, characters)
  local count = 0
  for character in line:gmatch("[%z\1-\127\194-\244][\128-\191]*") do
    if characters == 0 then break end
    characters = characters - 1
    count = count + (#character == 4 and 2 or 1)
  end
  return count
end

-- What `tessaron check` says of the text, as diagnostics of the protocol.
local function expected(lines)
  write("script.tsn", text_of(lines))
  local list = {}
  local output = vim.fn.system({program, "check", "--diagnostics=json", "script.tsn"})
  for json in output:gmatch("[^\n]+") do
    local said = vim.json.decode(json)
    if not (said.name == "cannot-open" and said.text:find("missing.hex", 1, true)) then
      local message, line = said.text, said.line
      if said.hint then message = message .. "\n" .. said.hint end
      local including
      for _, note in ipairs(said.notes or {}) do
        if note.text:find("^included from script.tsn:") then including = note.line end
        if not note.file then message = message .. "\n" .. note.text end
      end
      local range = {0, 0, 0, 0}
      if said.file == "script.tsn" and said.column then
        local text = lines[line] or ""
        range = {line - 1, units(text, said.column - 1), line - 1, units(text, said.column - 1 + said.length)}
      elseif including then
        range = {including - 1, 0, including - 1, units(lines[including], 1000000)}
      end
      list[#list + 1] = {message, said.name or "", ({error = 1, warning = 2, note = 3})[said.severity], range}
    end
  end
  return list
end

local function compare()
  local got = {}
  for _, one in ipairs(diagnostics()) do
    local from, to = one.range.start, one.range["end"]
    got[#got + 1] = {one.message, one.code or "", one.severity, {from.line, from.character, to.line, to.character}}
  end
  equal("diagnostics", got, expected(vim.api.nvim_buf_get_lines(0, 0, -1, true)))
end

local function labels(params)
  local found = {}
  for _, item in ipairs(ask("completion", params).items) do found[item.label] = item end
  return found
end

local function features()
  equal("a sound script", diagnostics(), {})
  local known = vim.lsp.get_client_by_id(client).server_capabilities
  equal("the way of changes", known.textDocumentSync.change, 2)

  replace(7, 12, 7, 16, {"@Ap"})
  equal("the diagnostic", diagnostics()[1].message, "no image is called @Ap\ndid you mean @App (line 4)?")
  local here = at("@Ap ").position
  local fix = ask("codeAction", {range = {start = here, ["end"] = here}, context = {diagnostics = {}}})[1]
  vim.lsp.util.apply_workspace_edit(fix.edit, "utf-16")
  equal("the mended script", vim.api.nvim_buf_get_lines(0, 0, -1, true), base)
  equal("its diagnostics", diagnostics(), {})

  replace(8, 0, 8, 0, {"PRINT_CRC ", ""})
  local crc = labels({position = {line = 8, character = 10}})["@Crc"]
  equal("the completion", crc and crc.textEdit.newText, "@Crc")
  reset()
  local hover = ask("hover", at("CRC-16/MODBUS", 2))
  if not hover.contents.value:find("check value 0x4B37", 1, true) then fail("hover says", hover) end
  equal("the definition", ask("definition", at("@App }", 1)).range.start, {line = 3, character = 11})
  local references = at("@Crc", 1)
  references.context = {includeDeclaration = true}
  equal("references", #ask("references", references), 4)
  equal("highlights", #ask("documentHighlight", at("@Crc", 1)), 4)
  equal("what is renamed", ask("prepareRename", at("@Crc", 1)).placeholder, "@Crc")
  local rename = at("limit=", 1)
  rename.newName = "most"
  vim.lsp.util.apply_workspace_edit(ask("rename", rename), "utf-16")
  vim.cmd("silent wall | silent edit part.tsn")
  equal("the renamed parameter", vim.api.nvim_buf_get_lines(0, 0, -1, true)[5], "PRINT_BUFFER @Part -useAreas={{0, most}}")
  vim.cmd("bdelete! | buffer script.tsn")
  write("part.tsn", part)
  reset()
  vim.lsp.get_client_by_id(client).notify("workspace/didChangeWatchedFiles", {changes = {}})
  equal("the outline", #ask("documentSymbol", {}), 5)
  equal("folds", ask("foldingRange", {}), {{startLine = 5, endLine = 6}})
  local tokens = ask("semanticTokens/full", {}).data
  equal("the first colour", vim.list_slice(tokens, 1, 5), {0, 0, 10, 1, 0})
  replace(9, 10, 9, 11, {"    "})
  vim.lsp.util.apply_text_edits(ask("formatting", {options = {tabSize = 4, insertSpaces = true}}), 0, "utf-16")
  equal("the format", vim.api.nvim_buf_get_lines(0, 9, 10, true), {base[10]})
end

-- Park and Miller's generator, so that every run is the same.
local state = 20261126
local function random(count)
  state = state * 16807 % 2147483647
  return state % count
end

local pieces = {
  "NEW_BUFFER @B FROM_VALUES { 1, 2 }", "NEW_CRC @Crc2 FROM_BUFFER @App", "FILL_BUFFER @App WITH_VALUES { 0x1FF }",
  "PRINT_TEXT {a", "PRINT_CRC @Cr", "WRITE_FILE out.hex WITH_BUFFERS {@App}", "-useAreas={{0,4}}", "-setType=", "SIZE",
  "SUBSTITUTE X WITH 4", "PARAMETER size DEFAULT 4", "INCLUDE part.tsn WITH { image=@B }", "INCLUDE none.tsn", "// ",
  "{", "}", "\"", "@App", " ", "\t", "0x", "12", "=", "\226\130\172", "\240\157\132\158", "\195\164", "(", ")", "%", "\\",
}
local questions = {"completion", "hover", "definition", "documentSymbol", "foldingRange", "semanticTokens/full",
                   "documentHighlight", "prepareRename", "formatting", "references", "rename"}

local function edit(number)
  if number % 40 == 0 then return reset() end
  local count = vim.api.nvim_buf_line_count(0)
  local line = 1 + random(count - 1)
  local text = vim.api.nvim_buf_get_lines(0, line, line + 1, true)[1]
  -- Between characters.
  local from = vim.str_byteindex(text, random(vim.str_utfindex(text) + 1))
  local kind = random(6)
  if kind < 3 then
    replace(line, from, line, from, {pieces[1 + random(#pieces)]})
  elseif kind == 3 then
    replace(line, from, line, from, {"", ""})
  elseif kind == 4 then
    local rest = text:sub(from + 1)
    local last = from + vim.str_byteindex(rest, math.min(random(6), vim.str_utfindex(rest)))
    replace(line, from, line, last, {""})
  elseif line + 1 < count then
    replace(line, from, line + 1, 0, {""})
  end
end

local function check_range(what, range, lines)
  local from, to = range.start, range["end"]
  local is_ordered = from.line < to.line or (from.line == to.line and from.character <= to.character)
  if not is_ordered or to.line > #lines then fail(what, "has the range", range) end
end

local function question(number)
  local lines = vim.api.nvim_buf_get_lines(0, 0, -1, true)
  local line = random(#lines)
  local method = questions[1 + number % #questions]
  local answer = ask(method, {
    position = {line = line, character = random(#lines[line + 1] + 2)}, newName = "@New",
    options = {tabSize = 4, insertSpaces = true}, context = {includeDeclaration = false},
  })
  if type(answer) ~= "table" then return end
  if method:find("^semantic") then
    local at_line, column = 0, 0
    for i = 1, #answer.data, 5 do
      column = answer.data[i] == 0 and column + answer.data[i + 1] or answer.data[i + 1]
      at_line = at_line + answer.data[i]
      if column + answer.data[i + 2] > units(lines[at_line + 1] or "", 1000000) then fail("a token ends beyond its line") end
    end
    return
  end
  for _, one in ipairs(answer.items or answer) do
    local range = one.range or (one.textEdit and one.textEdit.range) or (one.location and one.location.range)
    if range and (not one.uri or one.uri == uri) then check_range(method, range, lines) end
  end
end

local good, message = pcall(function()
  features()
  reset()
  local seen = {}
  for number = 1, edits do
    edit(number)
    question(number)
    compare()
    for _, one in ipairs(published[uri].diagnostics) do seen[one.code or "note"] = true end
  end
  local kinds = vim.tbl_keys(seen)
  if edits >= 1000 and #kinds < 6 then fail("the edits led to few kinds of diagnostics:", kinds) end
  vim.lsp.stop_client(client)
  vim.wait(timeout, function() return exit ~= nil end, 10)
  equal("the exit code of the server", exit, 0)
  print(edits .. " edits, diagnostics of the kinds " .. table.concat(kinds, " "))
end)
if not good then fail(message) end
vim.cmd("qall!")
