" Configuration of tarnwick: the files of the directories that its tools read.
autocmd BufNewFile,BufRead */tarnwick.conf.d/*.conf setfiletype tarnwick
