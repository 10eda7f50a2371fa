# A million warnings need no more memory than a million values.
{
    echo 'NEW_BUFFER @a FROM_VALUES {1'
    yes ', 0x1FF' | head -n 1000000
    echo '}'
} >script.tsn
